"""zlib streams by another hand.

    zlib_streams.py compress FOLDER    writes NAME.LEVEL, a stream of each level, beside every file NAME
    zlib_streams.py check FOLDER       fails unless every NAME.z is a stream of what the file NAME holds"""

import pathlib
import sys
import zlib

command, folder = sys.argv[1], pathlib.Path(sys.argv[2])
for path in sorted(folder.iterdir()):
    if path.suffix:
        continue
    data = path.read_bytes()
    if command == "compress":
        for level in range(10):
            path.with_suffix(".%d" % level).write_bytes(zlib.compress(data, level))
    elif zlib.decompress(path.with_suffix(".z").read_bytes()) != data:
        sys.exit("%s.z differs" % path)
