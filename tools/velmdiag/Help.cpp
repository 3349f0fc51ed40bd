#include "Help.h"

#include <algorithm>
#include <iostream>
#include <sstream>

namespace velmdiag {
namespace {

constexpr std::size_t kColumns = 80;
const std::string kExample = "\nExample:\n  ";

/// Breaks lines at blanks to fit a terminal of 80 columns.
std::string Wrap(const std::string& text) {
    std::istringstream lines(text);
    std::string wrapped;
    for (std::string line; std::getline(lines, line);) {
        while (line.size() > kColumns && line.rfind(' ', kColumns) != std::string::npos) {
            const std::size_t blank = line.rfind(' ', kColumns);
            wrapped += line.substr(0, blank) + '\n';
            line.erase(0, blank + 1);
        }
        wrapped += line + '\n';
    }
    return wrapped;
}

/// The commands that can be run: all without subcommands.
std::vector<const CLI::App*> RunnableCommands(const CLI::App& app) {
    std::vector<const CLI::App*> commands;
    for (const CLI::App* const command : app.get_subcommands({})) {
        const auto inner = RunnableCommands(*command);
        commands.insert(commands.end(), inner.begin(), inner.end());
        if (inner.empty()) {
            commands.push_back(command);
        }
    }
    return commands;
}

/// Such as "config ini".
std::string CommandPath(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    return parent == nullptr              ? ""
           : CommandPath(*parent).empty() ? command.get_name()
                                          : CommandPath(*parent) + ' ' + command.get_name();
}

std::string ExampleOf(const CLI::App& command) {
    const std::string footer = command.get_footer();
    const std::size_t at = footer.find(kExample);
    return at == std::string::npos ? "" : footer.substr(at + kExample.size());
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// Escapes text for roff: backslashes, hyphens, and control characters such as "." at the start of a line.
std::string Roff(const std::string& text) {
    return Replace(Replace(Replace(text, "\\", "\\e"), "-", "\\-"), "\n", "\n\\&");
}

bool TakesValue(const CLI::Option& option) {
    return option.nonpositional() && option.get_items_expected_max() != 0;
}

/// An option's values as "{a,b}" if they are a fixed set, otherwise their type, such as "FILE".
std::string KindOfValue(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t set = type.find('{');
    return set != std::string::npos ? type.substr(set) : type;
}

/// What follows an option on the manual page, such as " DURATION (default: 5s)".
std::string ValueOf(const CLI::Option& option) {
    if (!TakesValue(option)) {
        return "";
    }
    const std::string standard = option.get_default_str();
    return ' ' + KindOfValue(option) + (standard.empty() ? "" : " (default: " + standard + ')');
}

std::string ManPage(const CLI::App& app) {
    std::ostringstream page;
    page << ".TH VELMDIAG 1 \"\" \"VelmUtil " VELM_VERSION "\" \"User Commands\"\n"
         << ".SH NAME\nvelmdiag \\- " << Roff(app.get_description()) << '\n'
         << ".SH SYNOPSIS\n.B velmdiag\n.I COMMAND\n[\\fIOPTIONS\\fR]\n.SH COMMANDS\n";
    for (const CLI::App* const command : RunnableCommands(app)) {
        page << ".SS " << CommandPath(*command) << '\n' << Roff(command->get_description()) << ".\n";
        for (const CLI::Option* const option : command->get_options()) {
            page << ".TP\n.B " << Roff(option->get_name(false, true)) << Roff(ValueOf(*option)) << '\n'
                 << Roff(option->get_description()) << '\n';
        }
        const std::string footer = command->get_footer();
        page << ".PP\n"
             << Roff(footer.substr(0, footer.find(kExample))) << "\n.PP\n.EX\n"
             << Roff(ExampleOf(*command)) << "\n.EE\n";
    }
    page << ".SH \"EXIT STATUS\"\n0 on success, 1 if the command failed or its answer is no, 2 for wrong "
            "usage; exceptions are described with the command. 3 if the command succeeded but its output "
            "could not be written.\n"
         << ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\nno colours, even on a terminal\n";
    return page.str();
}

/// The words that may follow a command: its subcommands and options.
std::string WordsOf(const CLI::App& app) {
    std::string words;
    for (const CLI::App* const command : app.get_subcommands({})) {
        words += command->get_name() + ' ';
    }
    for (const CLI::Option* const option : app.get_options()) {
        if (option->nonpositional()) {
            words += "--" + option->get_lnames().front() + ' ';
        }
    }
    return words;
}

/// Whether a command has a positional argument that is a file.
bool TakesFile(const CLI::App& app) {
    const auto options = app.get_options();
    return std::any_of(options.begin(), options.end(), [](const CLI::Option* option) {
        return !option->nonpositional() && option->get_type_name() == kFileType;
    });
}

/// The parts of the completion script, each the body of a "case".
struct CompletionCases {
    std::ostringstream commands;  ///< patterns: a command's path and the next word, if that is a command
    std::ostringstream words;     ///< by path: what may follow
    std::ostringstream values;    ///< by path and option: its values
};

void AddCases(const CLI::App& app, CompletionCases& cases) {
    const std::string path = CommandPath(app);
    cases.words << "        \"" << path << "\") words=\"" << WordsOf(app) << '"'
                << (TakesFile(app) ? " files=1" : "") << " ;;\n";
    for (const CLI::Option* const option : app.get_options()) {
        if (!TakesValue(*option)) {
            continue;
        }
        std::string kind = KindOfValue(*option);
        const bool isSet = kind.starts_with('{');
        std::replace_if(
            kind.begin(), kind.end(), [](char c) { return c == '{' || c == ',' || c == '}'; }, ' ');
        cases.values << "        \"" << path << " --" << option->get_lnames().front() << "\") words=\""
                     << (isSet ? kind : "") << '"' << (kind == kFileType ? " files=1" : " files=") << " ;;\n";
    }
    for (const CLI::App* const command : app.get_subcommands({})) {
        cases.commands << "\"" << path << ' ' << command->get_name() << "\"|";
        AddCases(*command, cases);
    }
}

std::string BashCompletion(const CLI::App& app) {
    CompletionCases cases;
    AddCases(app, cases);
    std::string commands = cases.commands.str();
    commands.pop_back();
    return "# Bash completion of velmdiag, generated by velmdiag --completion.\n"
           "_velmdiag() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} path= word= words= files=\n"
           "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case \"$path $word\" in\n"
           "        " +
           commands +
           ") path=${path:+$path }$word ;;\n"
           "        esac\n"
           "    done\n"
           "    case $path in\n" +
           cases.words.str() +
           "    esac\n"
           "    case \"$path $word\" in\n" +
           cases.values.str() +
           "    esac\n"
           "    if [[ -n $files && $current != -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "        compopt -o filenames 2>/dev/null\n"
           "    else\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "    fi\n"
           "}\n"
           "complete -F _velmdiag velmdiag velmdiag.exe\n";
}

}  // namespace

void Explain(CLI::App* command, const std::string& text, const std::string& example) {
    command->footer(Wrap(text) + kExample + example);
}

void AddHelp(CLI::App& app) {
    std::string examples = "Examples:";
    for (const CLI::App* const command : RunnableCommands(app)) {
        examples += "\n  " + ExampleOf(*command);
    }
    app.footer(examples);
    const auto add = [&app](const char* name, const char* description, std::string (*text)(const CLI::App&)) {
        app.add_flag_callback(
            name,
            [&app, text] {
                std::cout << text(app);
                throw CLI::Success();
            },
            description);
    };
    add("--version", "Print the version and exit",
        [](const CLI::App&) { return std::string(VELM_VERSION "\n"); });
    add("--man", "Print the manual page and exit", ManPage);
    add("--completion", "Print the completion script for bash and exit", BashCompletion);
}

}  // namespace velmdiag
