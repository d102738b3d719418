# Makes an interactive zsh write what it offers into the file "offered", then a line "done".
autoload -U compinit
compinit -D -u

compadd() {
    # With these options, in front of the words, nothing is offered.
    if [[ " ${(j: :)@[1,(i)(-|--)]} " == *" "-[OAD]" "* ]]; then
        builtin compadd "$@"
        return
    fi
    local -a offered
    builtin compadd -A offered "$@"
    print -rl -- $offered >>offered
    builtin compadd "$@"
}

offer() {
    zle complete-word
    print done >>offered
}
zle -N offer
bindkey '^I' offer
