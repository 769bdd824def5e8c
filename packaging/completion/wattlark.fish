# Completion in fish. The program itself says what can follow; without an answer a file name can.
function __wattlark_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l found ($words[1] --complete $words[2..-1] 2>/dev/null)
    if test (count $found) -gt 0
        printf '%s\n' $found
    else
        __fish_complete_path (commandline -ct)
    end
end
complete -c wattlark -f -a "(__wattlark_complete)"
complete -c wattlark-headless -f -a "(__wattlark_complete)"
