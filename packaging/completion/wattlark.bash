# Completion in bash. The program itself says what can follow; without an answer a file name can.
_wattlark() {
  local words=("${COMP_WORDS[@]:1:COMP_CWORD}") found word
  words=("${words[@]/#\~\//$HOME/}")
  COMPREPLY=()
  mapfile -t found < <("${COMP_WORDS[0]/#\~\//$HOME/}" --complete "${words[@]}" 2>/dev/null)
  for word in "${found[@]}"; do
    COMPREPLY+=("$(printf '%q' "$word")")
  done
}
complete -o default -F _wattlark wattlark wattlark-headless
