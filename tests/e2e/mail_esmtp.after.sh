/usr/bin/python3 "$LW_E2E_DIR/mail_show.py" --events "$LW_E2E_WORK/smtp"
/usr/bin/python3 "$LW_E2E_DIR/mail_show.py" "$LW_E2E_WORK/smtp" | grep -E '^(0|From:|To:|Subject:|X-Mailer:)'
# The mail password is in nothing the server kept.
grep -rl 'm41l-s3cret' "$LW_E2E_WORK/smtp" || echo "password recorded: nowhere"
