grep -i lastupdatecheck "$XDG_CONFIG_HOME/lotwright/settings.ini"
