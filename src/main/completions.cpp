#include "main/completions.hpp"

#include "main/verimark_options.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kFileValue = "FILE"; ///< the value of the options that take a file's name

std::string joined(std::span<const std::string_view> words) {
    std::string text;
    for (const std::string_view word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

/// "-f|--format" as a pattern, or with another sign between them.
std::string spellings(const OptionRow& row, std::string_view between) {
    std::string text;
    if (row.letter != 0) text.append({'-', row.letter}).append(between);
    return text.append("--").append(row.name);
}

/// The rows that a user sees.
template <class Use> void eachOption(Use use) {
    for (const OptionRow& row : optionRows())
        if (row.group != OptionGroup::hidden) use(row);
}

std::string bashCompletions() {
    std::string values;
    std::string attached;
    std::string names;
    eachOption([&](const OptionRow& row) {
        names.append(names.empty() ? "--" : " --").append(row.name).append(row.value.empty() ? "" : "=");
        if (row.value.empty()) return;
        values.append("    ").append(spellings(row, "|")).append(")");
        if (!row.choices.empty()) {
            values.append(" COMPREPLY=($(compgen -W '").append(joined(row.choices)).append("' -- \"$cur\"));");
        } else if (row.value == kFileValue) {
            values.append(" compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- \"$cur\");");
        }
        values.append(" return ;;\n");
        if (row.letter == 0 || row.choices.empty()) return;
        const std::string option{'-', row.letter};
        attached.append("    ").append(option).append("?*) COMPREPLY=($(compgen -P ").append(option);
        attached.append(" -W '").append(joined(row.choices)).append("' -- \"${cur#").append(option);
        attached.append("}\")); return ;;\n");
    });
    std::string text =
        "# bash completion for verimark\n"
        "_verimark() {\n"
        "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
        "    COMPREPLY=()\n"
        "    # \"=\" is a word of its own\n"
        "    if [[ $cur == \"=\" ]]; then cur=; elif [[ $prev == \"=\" ]]; then prev=${COMP_WORDS[COMP_CWORD-2]}; fi\n"
        "    case $prev in\n";
    text.append(values).append("    esac\n    case $cur in\n").append(attached);
    text.append("    -*) COMPREPLY=($(compgen -W '").append(names);
    text.append(
        "' -- \"$cur\"))\n"
        "        if [[ ${COMPREPLY[0]-} == *= ]]; then compopt -o nospace; fi\n"
        "        return ;;\n"
        "    esac\n"
        "    compopt -o filenames\n"
        "    local name\n"
        "    while IFS= read -r name; do\n"
        "        case ${name,,} in *.ibs|*.pkg|*.ebd|*.ami) COMPREPLY+=(\"$name\") ;;\n"
        "        *) if [[ -d $name ]]; then COMPREPLY+=(\"$name\"); fi ;;\n"
        "        esac\n"
        "    done < <(compgen -f -- \"$cur\")\n"
        "}\n"
        "complete -F _verimark verimark\n");
    return text;
}

std::string zshCompletions() {
    std::string text = "#compdef verimark\n_arguments -S \\\n";
    eachOption([&](const OptionRow& row) {
        std::string names = "--" + std::string(row.name);
        if (!row.value.empty()) names.push_back('=');
        text.append("    ");
        if (row.letter != 0) {
            text.append("'(").append(spellings(row, " ")).append(")'{-").append({row.letter});
            text.append(row.value.empty() ? "" : "+").append(",").append(names).append("}'");
        } else {
            text.append("'").append(names);
        }
        text.append("[").append(row.help).append("]");
        if (!row.value.empty()) {
            text.append(":").append(row.value).append(":");
            if (!row.choices.empty()) text.append("(").append(joined(row.choices)).append(")");
            if (row.value == kFileValue) text.append("_files");
        }
        text.append("' \\\n");
    });
    return text.append("    '*:file:_files -g \"*.(#i)(ibs|pkg|ebd|ami)\"'\n");
}

std::string fishCompletions() {
    std::string text = "# fish completion for verimark\n";
    eachOption([&](const OptionRow& row) {
        text.append("complete -c verimark");
        if (row.letter != 0) text.append(" -s ").append({row.letter});
        text.append(" -l ").append(row.name);
        if (!row.choices.empty()) {
            text.append(" -x -a '").append(joined(row.choices)).append("'");
        } else if (!row.value.empty()) {
            text.append(row.value == kFileValue ? " -r -F" : " -x");
        }
        text.append(" -d '").append(row.help).append("'\n");
    });
    return text;
}

} // namespace

std::string completionsFor(std::string_view shell) {
    if (shell == "bash") return bashCompletions();
    return shell == "zsh" ? zshCompletions() : fishCompletions();
}

} // namespace kestrel
