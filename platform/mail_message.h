// An Internet mail message as the mail transports put it on the wire: the header lines a mail program
// writes, the letter's own extra header lines, and the body with CR LF line ends, encoded so that any
// letter (accents, the euro sign, lines of any length) arrives as it was written.
#pragma once

#include <string>
#include <vector>

namespace lw {

struct MailMessage {
  std::string from;                        // the sender as the From line shows it: "Name<address>"
  std::string to;                          // the recipient's address
  std::string cc;                          // empty for none
  std::string subject;                     // UTF-8
  std::vector<std::string> extra_headers;  // whole lines such as "X-Mailer: Lotwright"
  std::string body;                        // UTF-8, any line ends
  std::string date;                        // the Date line's value; empty for none
};

// The message as it goes to the server: headers, an empty line, the body. Every line ends in CR LF.
// Non-ASCII words in the sender's name and the subject become encoded words, long header lines are
// folded at blanks, and a body that is not plain short-lined ASCII goes quoted-printable.
std::string ComposeMailMessage(const MailMessage& message);

// The body with every line end (LF, CR or CR LF) made a CR LF pair.
std::string CrlfLines(const std::string& text);

// "Sat, 21 Nov 2026 10:00:00 +0000" for the present moment in the local zone.
std::string MailDateNow();

}  // namespace lw
