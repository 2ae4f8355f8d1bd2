# No date was written, and the working copy of server.ini is gone from the database folder.
grep -i lastupdatecheck "$XDG_CONFIG_HOME/lotwright/settings.ini" || echo "  no lastupdatecheck"
ls "$XDG_DATA_HOME/lotwright" | grep -i server.ini || echo "  no server.ini"
echo "  logons: $(grep -c '^USER anonymous' "$LW_E2E_WORK/ftp/commands.log")"
