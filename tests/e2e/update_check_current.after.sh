# The date of the last check, and how often the server was asked.
grep -i lastupdatecheck "$XDG_CONFIG_HOME/lotwright/settings.ini"
echo "  logons: $(grep -c '^USER anonymous' "$LW_E2E_WORK/ftp/commands.log")"
