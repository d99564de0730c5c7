// Implements: AskForSecret, ReadSecretLine.
#include "secret_buffer.h"

#include <kestrona/host/encryption_key.h>
#include <kestrona/unicode.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace Kestrona::Host {

namespace {

constexpr const char* kTerminal = "/dev/tty";
constexpr std::size_t kLongestLine = 4096;
constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

volatile std::sig_atomic_t signal_seen = 0;

void NoteSignal(int number) {
    signal_seen = number;
}

// Holds back the signals that end a process. One that comes is noted, and breaks off a wait for input; the destructor
// sends it again, to whatever handled it before. So the terminal is put in order before the process ends.
class HeldSignals {
public:
    HeldSignals() {
        signal_seen = 0;
        sigset_t held;
        sigemptyset(&held);
        for (const int number : kEndingSignals) {
            sigaddset(&held, number);
        }
        pthread_sigmask(SIG_BLOCK, &held, &former_mask_);

        struct sigaction note {};

        note.sa_handler = NoteSignal; // without SA_RESTART
        for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
            sigaction(kEndingSignals[i], &note, &former_[i]);
        }
    }

    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    ~HeldSignals() {
        for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
            sigaction(kEndingSignals[i], &former_[i], nullptr);
        }
        pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
        if (signal_seen != 0) {
            std::raise(signal_seen);
        }
    }

    // False with errno when a signal came, also one that came before the call.
    [[nodiscard]] bool WaitFor(int descriptor) const {
        pollfd waited{descriptor, POLLIN, 0};
        return ppoll(&waited, 1, nullptr, &former_mask_) >= 0;
    }

private:
    std::array<struct sigaction, kEndingSignals.size()> former_{};
    sigset_t former_mask_{};
};

// The terminal of the process, which shows nothing of what is typed.
class SilentTerminal {
public:
    SilentTerminal() : descriptor_(open(kTerminal, O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (descriptor_ >= 0 && tcgetattr(descriptor_, &former_) == 0) {
            termios silent = former_;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            silent.c_lflag |= ICANON | ECHONL;
            // The flush drops what was typed before the question.
            is_silent_ = tcsetattr(descriptor_, TCSAFLUSH, &silent) == 0;
        }
    }

    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    ~SilentTerminal() {
        if (is_silent_) {
            tcsetattr(descriptor_, TCSADRAIN, &former_);
        }
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    [[nodiscard]] bool IsSilent() const { return is_silent_; }

    [[nodiscard]] int Descriptor() const { return descriptor_; }

private:
    int descriptor_;
    termios former_{};
    bool is_silent_ = false;
};

TypedSecret Refuse(std::string error) {
    return {{}, std::move(error)};
}

TypedSecret Take(std::string_view line) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (line.empty()) {
        return Refuse("the pass phrase is empty");
    }
    if (!IsValidUtf8(line) || line.find('\0') != std::string_view::npos) {
        return Refuse("the pass phrase is no text in UTF-8");
    }
    return {SecretText(FromUtf8(line)), {}};
}

// Without `signals`, signals do what they always do.
TypedSecret ReadLine(int descriptor, const HeldSignals* signals) {
    SecretBuffer<kLongestLine> buffer;
    while (!buffer.IsFull()) {
        const bool is_ready = signals == nullptr || signals->WaitFor(descriptor);
        const ssize_t got = is_ready ? read(descriptor, buffer.End(), 1) : -1;
        if (got < 0 && errno == EINTR && (signals == nullptr || signal_seen == 0)) {
            continue;
        }
        if (got < 0) {
            return Refuse(std::string("the pass phrase cannot be read: ") + std::strerror(errno));
        }
        if (got == 0 || *buffer.End() == '\n') {
            return Take(buffer.View());
        }
        buffer.Grow(1);
    }
    return Refuse("the pass phrase is too long");
}

} // namespace

TypedSecret ReadSecretLine(int descriptor) {
    return ReadLine(descriptor, nullptr);
}

TypedSecret AskForSecret(const std::string& prompt) {
    const HeldSignals held;
    const SilentTerminal terminal;
    if (!terminal.IsSilent()) {
        return Refuse("there is no terminal to ask for the pass phrase");
    }
    if (write(terminal.Descriptor(), prompt.data(), prompt.size()) < 0) {
        return Refuse(std::string("the terminal cannot be written: ") + std::strerror(errno));
    }
    return ReadLine(terminal.Descriptor(), &held);
}

} // namespace Kestrona::Host
