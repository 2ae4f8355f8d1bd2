# The server was asked to log on once.
sed 's/^/  /' "$LW_E2E_WORK/ftp/commands.log"
