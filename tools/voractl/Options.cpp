#include "Options.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Format.h"
#include "Kinds.h"
#include "Width.h"
#include "ToolError.h"

namespace voractl {

namespace {

[[noreturn]] void Print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::exit(0);
}

// "--name VALUE", "--name[=VALUE]" or "--name", as usage and help show it.
std::string Written(const OptionSpec& option) {
    const std::string value = option.value != nullptr ? option.value : "";
    switch (option.takes) {
        case Takes::Value: return std::string(option.name) + " " + value;
        case Takes::Attached: return std::string(option.name) + "[=" + value + "]";
        default: return option.name;
    }
}

// Help texts are written as paragraphs, "\n\n" between them, and wrapped
// here to fit a terminal of 80 columns.
constexpr size_t kWidth = 79;

// `words` in lines of at most `width` characters, each but the first after
// `indent` blanks; a word longer than a line has one of its own.
std::string Filled(const std::vector<std::string>& words, size_t width, size_t indent) {
    std::vector<std::string> lines = Wrapped(std::string(indent, ' '), words, width + indent);
    lines.front().erase(0, indent);
    std::string out;
    for (const std::string& line : lines) {
        out += (out.empty() ? "" : "\n") + line;
    }
    return out + "\n";
}

// `text`, paragraphs with "\n\n" between them, each filled as Filled does.
std::string Paragraphs(const std::string& text, size_t width, size_t indent) {
    std::string out;
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find("\n\n", at), text.size());
        std::vector<std::string> words;
        for (size_t i = at, next; i < end; i = next + 1) {
            next = std::min(text.find_first_of(" \n", i), end);
            if (next > i) {
                words.emplace_back(text, i, next - i);
            }
        }
        out += (at > 0 ? "\n" + std::string(indent, ' ') : "") + Filled(words, width, indent);
        at = end + 2;
    }
    return out;
}

// `text` beside a first column `width` wide holding `first`, or under it
// when `first` does not leave room.
std::string Columns(const std::string& first, size_t width, const std::string& text) {
    std::string out = "  " + first;
    out += first.size() + 2 <= width ? std::string(width - first.size(), ' ')
                                     : "\n" + std::string(width + 2, ' ');
    return out + Paragraphs(text, kWidth - width - 2, width + 2);
}

std::string OptionLines(const std::vector<OptionUse>& options) {
    size_t width = 0;
    std::vector<std::string> names;
    for (const OptionUse& use : options) {
        const OptionSpec& option = *use.option;
        names.push_back((option.alias != nullptr ? std::string(option.alias) + ", " : "") +
                        Written(option));
        width = std::max(width, names.back().size() + 2);
    }
    width = std::min<size_t>(width, 26);  // a longer name has the line to itself
    std::string text;
    for (size_t i = 0; i < options.size(); ++i) {
        text += Columns(names[i], width, options[i].help);
    }
    return text;
}

// The synopsis of `command`, a line for each form of its arguments, each
// the words after "voractl [OPTIONS] COMMAND" (an option with its value is
// one word, as is a form of arguments).
std::vector<std::vector<std::string>> Synopsis(const CommandSpec& command) {
    std::vector<std::string> options;
    for (size_t i = 0; i < command.options.size(); ++i) {
        const OptionUse& use = command.options[i];
        const std::string word = use.required ? Written(*use.option) : "[" + Written(*use.option) + "]";
        if (i > 0 && use.with == command.options[i - 1].option && !options.back().empty() &&
            options.back().back() == ']') {
            options.back().insert(options.back().size() - 1, " " + word);  // [--a A [--b B]]
        } else {
            options.push_back(word);
        }
    }
    std::vector<std::vector<std::string>> lines;
    for (const char* form : command.forms) {
        lines.push_back(options);
        lines.back().push_back(form);
    }
    if (lines.empty()) {
        lines.push_back(options);
    }
    return lines;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() || word.empty() ? "" : " ") + word;
    }
    return line;
}

const CommandSpec* Find(const CommandLine& table, const std::string& name) {
    for (const CommandSpec& command : table.commands) {
        if (name == command.name) {
            return &command;
        }
    }
    return nullptr;
}

std::string CommandNames(const CommandLine& table) {
    std::string names;
    for (const CommandSpec& command : table.commands) {
        names += (names.empty() ? "" : ", ") + std::string(command.name);
    }
    return names;
}

// For the shell completion, which asks voractl rather than keep lists of its
// own: each command with what its arguments are ("voractl --commands"), and
// each option of voractl or of a command with how it takes its value and
// the words it takes ("voractl --options [COMMAND]"), and each two-state
// unit's words ("voractl --words"). Not in the help: no person types them.
[[noreturn]] void PrintCompletion(const CommandLine& table, int argc, char** argv) {
    static const char* const kArguments[] = {"", " groups", " items", " settable", " commands"};
    static const char* const kTakes[] = {"flag", "value", "=value"};
    std::string text;
    if (std::strcmp(argv[1], "--words") == 0) {
        Print(TwoStateWordLines());
    }
    if (std::strcmp(argv[1], "--commands") == 0) {
        if (argc > 2) {
            throw ToolError("--commands takes no arguments", true);
        }
        for (const CommandSpec& command : table.commands) {
            text += command.name + std::string(kArguments[static_cast<int>(command.completes)]) + "\n";
        }
        Print(text + "help commands\n");
    }
    const CommandSpec* command = argc > 2 ? Find(table, argv[2]) : nullptr;
    if (argc > 3 || (argc == 3 && command == nullptr)) {
        throw ToolError("--options takes a command (see voractl --commands), or none", true);
    }
    for (const OptionUse& use : command != nullptr ? command->options : table.options) {
        const OptionSpec& option = *use.option;
        std::string takes = kTakes[static_cast<int>(option.takes)];
        if (option.completes == Completes::Files) {
            takes.replace(takes.find("value"), 5, "file");
        } else if (option.completes == Completes::Words) {
            takes.replace(takes.find("value"), 5, "words ");
            std::replace_copy(option.value, option.value + std::strlen(option.value),
                              std::back_inserter(takes), '|', ' ');
        }
        text += std::string(option.name) + " " + takes + "\n";
    }
    Print(command != nullptr ? text + "--help flag\n" : text);
}

// The option `arg` names among `options`; null for none.
const OptionUse* Named(const std::vector<OptionUse>& options, const std::string& arg) {
    const std::string name = arg.substr(0, arg.find('='));
    for (const OptionUse& use : options) {
        if (name == use.option->name || (use.option->alias != nullptr && arg == use.option->alias)) {
            return &use;
        }
    }
    return nullptr;
}

// Takes `option` from argv[i] ("--name", "--name=VALUE") and, for a value
// given apart, argv[i + 1].
void Take(const OptionSpec& option, Options& options, int& i, int argc, char** argv) {
    const char* equals = std::strchr(argv[i], '=');
    const char* value = equals != nullptr ? equals + 1 : nullptr;
    if (value != nullptr && option.takes == Takes::Nothing) {
        throw ToolError(std::string(option.name) + " takes no value", true);
    }
    if (value == nullptr && option.takes == Takes::Value) {
        if (i + 1 >= argc) {
            throw ToolError(std::string(option.name) + " needs a value", true);
        }
        value = argv[++i];
    }
    option.take(options, value);
}

// voractl's own options, from argv[1] to the command; the index of the command.
int ParseGlobal(Options& options, int argc, char** argv, const CommandLine& table) {
    bool simulated = false;  // an option given that needs --sim
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        const OptionUse* use = Named(table.options, argv[i]);
        if (use == nullptr) {
            throw ToolError("unknown option " + std::string(argv[i]), true);
        }
        Take(*use->option, options, i, argc, argv);
        simulated = simulated || use->option->simulated;
        if (options.help) {
            Print(UsageText(table));
        } else if (options.version) {
            Print(std::string("voractl ") + table.version + "\n");
        }
    }
    if (simulated && !options.simulation.enabled) {
        std::string names;  // "--a, --b and --c"
        for (const OptionUse& use : table.options) {
            if (use.option->simulated) {
                names += (names.empty() ? "" : ", ") + std::string(use.option->name);
            }
        }
        const size_t last = names.rfind(", ");
        if (last != std::string::npos) {
            names.replace(last, 2, " and ");
        }
        throw ToolError(names + " choose the simulated board: give --sim too", true);
    }
    return i;
}

// What the command needs of its arguments and options, once all are read.
void Check(const CommandSpec& command, size_t arguments, const std::vector<const OptionSpec*>& given) {
    if (arguments < command.minArguments || arguments > command.maxArguments) {
        throw ToolError(command.wrongArguments != nullptr
                            ? command.wrongArguments
                            : std::string(command.name) + " takes no arguments",
                        true);
    }
    const auto missing = [&](const OptionSpec* option) {
        return std::find(given.begin(), given.end(), option) == given.end();
    };
    for (const OptionUse& use : command.options) {
        if (use.with != nullptr && !missing(use.option) && missing(use.with)) {
            throw ToolError(std::string(command.name) + " " + use.option->name + " " + use.does +
                                ": give " + use.with->name + " too", true);
        }
        if (use.required && missing(use.option)) {
            std::string value = use.option->value;  // "senml|prometheus": "senml or --format prometheus"
            for (size_t bar; (bar = value.find('|')) != std::string::npos;) {
                value.replace(bar, 1, std::string(" or ") + use.option->name + " ");
            }
            throw ToolError(std::string(command.name) + " needs " + use.option->name + " " + value, true);
        }
    }
}

// The command's own options and arguments, from argv[i] on.
void ParseCommand(Options& options, int i, int argc, char** argv) {
    const CommandSpec& command = *options.command;
    std::vector<const OptionSpec*> given;
    for (; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            Print(HelpText(command));
        } else if (arg == "--") {
            options.arguments.insert(options.arguments.end(), argv + i + 1, argv + argc);
            break;
        } else if (arg.rfind("--", 0) != 0 || arg.size() == 2) {
            options.arguments.push_back(arg);  // "-10" is a value to set
        } else if (const OptionUse* use = Named(command.options, arg)) {
            Take(*use->option, options, i, argc, argv);
            given.push_back(use->option);
        } else {
            throw ToolError("unknown option " + arg.substr(0, arg.find('=')) + " for " + command.name,
                            true);
        }
    }
    Check(command, options.arguments.size(), given);
}

}  // namespace

std::string UsageText(const CommandLine& table) {
    std::string text = "Usage: voractl [OPTIONS] COMMAND [ARGS]\n\n" +
                       Paragraphs(table.usageHead, kWidth, 0) + "\nCommands:\n";
    for (const CommandSpec& command : table.commands) {
        const std::vector<std::vector<std::string>> lines = Synopsis(command);
        for (size_t i = 0; i < lines.size(); ++i) {
            const std::string line = Joined({command.name, Joined(lines[i])});
            if (line.size() + 2 > kWidth) {  // a long synopsis goes on under its command
                std::vector<std::string> words{command.name};
                words.insert(words.end(), lines[i].begin(), lines[i].end());
                text += "  " + Filled(words, kWidth - 2, 4);
                text += i + 1 < lines.size() ? "" : Columns("", 34, command.summary);
            } else {
                text += i + 1 < lines.size() ? "  " + line + "\n" : Columns(line, 34, command.summary);
            }
        }
    }
    return text + "\n" + Paragraphs(table.afterCommands, kWidth, 0) + "\nOptions:\n" +
           OptionLines(table.options) + "\n" + Paragraphs(table.usageTail, kWidth, 0);
}

std::string HelpText(const CommandSpec& command) {
    std::string text;
    for (const std::vector<std::string>& words : Synopsis(command)) {
        // A long synopsis goes on under its command's arguments.
        const std::string head = (text.empty() ? "Usage: " : "       ") +
                                 std::string("voractl [OPTIONS] ") + command.name;
        text += head + (words.empty() ? "\n" : " " + Filled(words, kWidth - head.size() - 1, head.size() + 1));
    }
    text += "\n" + Paragraphs(command.description, kWidth, 0);
    if (!command.options.empty()) {
        text += "\n" + OptionLines(command.options);
    }
    return command.notes != nullptr ? text + "\n" + Paragraphs(command.notes, kWidth, 0) : text;
}

Options ParseOptions(int argc, char** argv, const CommandLine& table) {
    if (argc > 1 && (std::strcmp(argv[1], "--commands") == 0 || std::strcmp(argv[1], "--options") == 0 ||
                     std::strcmp(argv[1], "--words") == 0)) {
        PrintCompletion(table, argc, argv);
    }
    Options options;
    int i = ParseGlobal(options, argc, argv, table);
    if (i >= argc) {
        throw ToolError("no command given (see voractl --help)", true);
    }
    const std::string name = argv[i++];
    if (name == "help") {
        if (i == argc) {
            Print(UsageText(table));
        }
        if (i + 1 < argc) {
            throw ToolError("help takes one command", true);
        }
        const CommandSpec* topic = Find(table, argv[i]);
        if (topic == nullptr) {
            throw ToolError("no help on \"" + std::string(argv[i]) + "\"; commands: " +
                                CommandNames(table), true);
        }
        Print(HelpText(*topic));
    }
    options.command = Find(table, name);
    if (options.command == nullptr) {
        throw ToolError("unknown command \"" + name + "\" (see voractl --help)", true);
    }
    ParseCommand(options, i, argc, argv);
    return options;
}

}  // namespace voractl
