// Messages as they go on the wire: line ends made CR LF, words outside ASCII encoded, long subjects
// folded at blanks so that they unfold to the same text, and bodies that cannot travel as they are
// sent quoted-printable.
#include "platform/mail_message.h"

#include <gtest/gtest.h>

namespace lw {
namespace {

MailMessage Letter(std::string subject, std::string body) {
  MailMessage m;
  m.from = "Pat Seller<me@shop.example>";
  m.to = "b1@example.com";
  m.subject = std::move(subject);
  m.extra_headers = {"X-Mailer: Lotwright"};
  m.body = std::move(body);
  return m;
}

std::string Headers(const std::string& message) {
  return message.substr(0, message.find("\r\n\r\n") + 2);
}
std::string Body(const std::string& message) {
  return message.substr(message.find("\r\n\r\n") + 4);
}

TEST(MailMessage, PlainLettersKeepTheirTextAndEveryLineEndsInCrLf) {
  std::string m = ComposeMailMessage(Letter("Ebay Item # 7001 Oak Chair", "one\ntwo\rthree\r\n"));
  EXPECT_EQ(
      Headers(m),
      "From: Pat Seller<me@shop.example>\r\nTo: b1@example.com\r\nSubject: Ebay Item # 7001 Oak Chair\r\n"
      "X-Mailer: Lotwright\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=UTF-8\r\n"
      "Content-Transfer-Encoding: 7bit\r\n");
  EXPECT_EQ(Body(m), "one\r\ntwo\r\nthree\r\n");
  EXPECT_EQ(CrlfLines("a\r\n\nb\r"), "a\r\n\r\nb\r\n");
}

TEST(MailMessage, ALongSubjectIsFoldedAtItsBlanksAndUnfoldsToItself) {
  std::string subject = "Ebay Item Numbers  ";
  for (int i = 0; i < 40; ++i) subject += std::to_string(100000000 + i) + " ";
  std::string headers = Headers(ComposeMailMessage(Letter(subject, "x")));
  size_t start = headers.find("Subject: ");
  std::string folded = headers.substr(start, headers.find("\r\nX-Mailer") - start);
  for (size_t at = 0, next; (next = folded.find("\r\n", at)) != std::string::npos; at = next + 2) {
    EXPECT_LE(next - at, 78u);
    EXPECT_EQ(folded[next + 2], ' ');
  }
  std::string unfolded;
  for (char c : folded)
    if (c != '\r' && c != '\n') unfolded += c;
  EXPECT_EQ(unfolded, "Subject: " + subject);
}

TEST(MailMessage, WordsOutsideAsciiAreEncodedAndSuchBodiesGoQuotedPrintable) {
  MailMessage l = Letter("Betaling ontvangen \xE2\x82\xAC 25,00",
                         "Totaal \xE2\x82\xAC 25,00 = klaar \r\n" + std::string(100, 'x') + "\r\n");
  l.from = "Jos\xC3\xA9 Verkoper<jose@winkel.example>";
  std::string m = ComposeMailMessage(l);
  EXPECT_NE(m.find("From: =?UTF-8?B?Sm9zw6kgVmVya29wZXI=?=<jose@winkel.example>\r\n"), std::string::npos);
  EXPECT_NE(m.find("Subject: =?UTF-8?B?QmV0YWxpbmcgb250dmFuZ2VuIOKCrCAyNSwwMA==?=\r\n"), std::string::npos);
  EXPECT_NE(m.find("Content-Transfer-Encoding: quoted-printable\r\n"), std::string::npos);
  // The euro sign and "=" encoded, the blank before the line end kept visible, long lines broken softly.
  EXPECT_EQ(Body(m), "Totaal =E2=82=AC 25,00 =3D klaar=20\r\n" + std::string(75, 'x') + "=\r\n" +
                         std::string(25, 'x') + "\r\n");
  // An ASCII body with a line of more than 998 characters cannot go as it is either.
  std::string long_line = ComposeMailMessage(Letter("s", std::string(1000, 'y')));
  EXPECT_NE(long_line.find("quoted-printable"), std::string::npos);
}

}  // namespace
}  // namespace lw
