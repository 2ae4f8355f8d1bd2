// Text operations with the exact semantics the page parsers and statement builders rely on.
// Positions count from 1; 0 means not found. Every comparison is case-sensitive.
#pragma once

#include "core/primitives/types.h"

namespace lw {

// Whole-text pattern match: * any run, ? one character, # one digit, [a-z] a set, [!a-z] its complement.
// Inside a set *, ? and # stand for themselves; "[]" matches no character. A '[' without its ']' or a
// descending range raises 93 "Invalid pattern string".
bool Like(TextView text, TextView pattern);

// First position of find at or after start (start counts from 1), else 0. An empty find gives start
// when start is within the text (or just past its end), else 0. Start 0 raises 5.
size_t InStr(size_t start, TextView text, TextView find);
inline size_t InStr(TextView text, TextView find) {
  return InStr(1, text, find);
}
// Last position of find, else 0. An empty find gives the length of the text.
size_t InStrRev(TextView text, TextView find);

// Every occurrence, left to right, without rescanning replaced text. An empty find changes nothing.
Text Replace(TextView text, TextView find, TextView with);

// Counts beyond the end yield what there is; never fail.
Text Left(TextView text, size_t count);
Text Right(TextView text, size_t count);
// Mid from start (1-based) to the end; start 0 raises 5, a start beyond the end gives "".
Text Mid(TextView text, size_t start);
Text Mid(TextView text, size_t start, size_t count);

// Blanks only; tabs and line breaks stay.
Text Trim(TextView text);
Text LTrim(TextView text);
Text RTrim(TextView text);
Text LCase(TextView text);
Text UCase(TextView text);
Text Space(size_t n);
// Codes 128-255 are those of the western code page (Chr(128) is the euro sign); above 255 a code is
// the 16-bit character itself. Negative codes or codes above 65535 raise 5.
Text Chr(int code);
// Code of the first character, the inverse of Chr; raises 5 on an empty text.
int Asc(TextView text);

// The number at the start of the text: skips blanks, tabs and line feeds (also inside the digits),
// takes a sign, digits, one point, an exponent, and stops quietly at anything else. Never fails.
double Val(TextView text);
// Null gives 0, a number, money or yes/no its value, a date its serial, a text as above.
double Val(const Variant& v);
// A text literal or a Text would convert to both of the above; these say which is meant.
inline double Val(const Text& text) {
  return Val(TextView(text));
}
inline double Val(const char16_t* text) {
  return Val(TextView(text));
}

}  // namespace lw
