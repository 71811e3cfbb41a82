#include "tools/dbapi/help/shell_scripts.h"

#include <array>
#include <string_view>
#include <utility>

namespace dbapi::tool {
namespace {
// The scripts ask the program itself for what can be typed, so that no script lags behind it. It
// gives the words quoted for the shell, which all three read alike.

constexpr std::string_view kBashScript = R"(# Completion of the command dbapi for bash.
# For this shell alone: source <(dbapi completion bash)
_dbapi() {
    local IFS=$'\n'
    COMPREPLY=($("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null))
}
complete -o bashdefault -o default -F _dbapi dbapi
)";

constexpr std::string_view kZshScript = R"(#compdef dbapi
# Completion of the command dbapi for zsh.
# For this shell alone, after compinit: source <(dbapi completion zsh)
_dbapi() {
    local -a found
    found=("${(@f)$("${words[1]}" complete -- "${(@)words[2,CURRENT]}" 2>/dev/null)}")
    if [[ -n "${found[1]}" ]]; then
        compadd -Q -U -- "${found[@]}"
    else
        _files
    fi
}
# As a file among zsh's own functions, this is read by the first call.
if [[ "${funcstack[1]}" == _dbapi ]]; then
    _dbapi "$@"
else
    compdef _dbapi dbapi
fi
)";

constexpr std::string_view kFishScript = R"(# Completion of the command dbapi for fish.
# For this shell alone: dbapi completion fish | source
function __dbapi_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l found ($words[1] complete -- $words[2..-1] 2>/dev/null | string unescape)
    if set -q found[1]
        printf '%s\n' $found
    else
        __fish_complete_path (commandline -ct)
    end
end
complete -c dbapi -f -a '(__dbapi_complete)'
)";

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kScripts{
    {{"bash", kBashScript}, {"zsh", kZshScript}, {"fish", kFishScript}}};
} // namespace

std::vector<std::string> shell_names()
{
    std::vector<std::string> names;
    for (const auto& [name, script] : kScripts) {
        names.emplace_back(name);
    }
    return names;
}

std::string completion_script(const std::string& shell)
{
    for (const auto& [name, script] : kScripts) {
        if (name == shell) {
            return std::string(script);
        }
    }
    return {};
}
} // namespace dbapi::tool
