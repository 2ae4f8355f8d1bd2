# The account pages the server was asked for.
curl -s "http://127.0.0.1:$LW_E2E_PORT/__control/log" | grep ViewAccount | cut -d' ' -f1,2
