# Types a line and the tabulator key into an interactive zsh, and prints the line that zsh makes of it.
#
#   zsh -f complete.zsh FOLDER_OF_FUNCTIONS LINE
zmodload zsh/zpty
folder=$1
line=$2

zpty shell "TERM=dumb zsh -f -i"
zpty -w shell "PS1= PS2= fpath=(${(q)folder} \$fpath); autoload -Uz compinit; compinit -u -D
show() { print -r -- \"<line>\$BUFFER</line>\"; exit }
zle -N show
bindkey '^I' complete-word '^X' show
print rea''dy"
zpty -r shell output '*ready*'
zpty -n -w shell "$line"$'\t'$'\C-X'
zpty -r shell output '*<line>*</line>*'
zpty -d shell
print -r -- "${${output##*<line>}%%</line>*}"
