cat "$HOME/desktop.log"
