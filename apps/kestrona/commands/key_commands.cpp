#include "commands/key_commands.h"

#include "commands/command_options.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace Kestrona::Tool {
namespace {

void AddCrypt(CLI::App& app, int& code, const char* name, const char* help, int (*run)(const CryptOptions&)) {
    const auto options = std::make_shared<CryptOptions>();
    CLI::App* const command = app.add_subcommand(name, help);
    AddKey(*command, options->key);
    command->add_option("TEXT", options->texts, "Texts; the lines of stdin without any");
    command->callback([options, run, &code] { code = run(*options); });
}

void AddProtectKey(CLI::App& app, int& code) {
    const auto options = std::make_shared<ProtectKeyOptions>();
    CLI::App* const command =
        app.add_subcommand("protect-key", "Turn a pass phrase into a key that only this user on this machine can read");
    command->add_option("-o,--output", options->file, "File to write; stdout without it")->option_text("FILE");
    command->add_flag("--force", options->force, "Replace the file if it is there");
    command->callback([options, &code] { code = RunProtectKey(*options); });
}

void AddAudit(CLI::App& app, int& code) {
    const auto options = std::make_shared<AuditShowOptions>();
    CLI::App* const audit = app.add_subcommand("audit", "Look at audit files");
    audit->require_subcommand(1);
    CLI::App* const show = audit->add_subcommand("show", "Print the entries, a row for each changed field");
    show->add_option("FILE", options->file, "Audit file")->required();
    AddOutputForm(*show, options->form);
    show->callback([options, &code] { code = RunAuditShow(*options); });
}

} // namespace

void AddKeyCommands(CLI::App& app, int& code) {
    AddCrypt(app, code, "encrypt", "Encrypt texts as encrypted fields hold them", RunEncrypt);
    AddCrypt(app, code, "decrypt", "Decrypt texts that encrypted fields hold", RunDecrypt);
    AddProtectKey(app, code);
    AddAudit(app, code);
}

} // namespace Kestrona::Tool
