# Nothing reached the account's directory, and no directory was changed.
ls -A "$LW_E2E_WORK/ftp/root/pics/pics" | sed 's/^/  /'
sed 's/^/  /' "$LW_E2E_WORK/ftp/commands.log"
