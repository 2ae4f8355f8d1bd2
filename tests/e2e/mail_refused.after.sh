/usr/bin/python3 "$LW_E2E_DIR/mail_show.py" --events "$LW_E2E_WORK/smtp"
/usr/bin/python3 "$LW_E2E_DIR/mail_show.py" "$LW_E2E_WORK/smtp"
