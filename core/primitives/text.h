// Text operations with the exact semantics the page parsers and statement builders rely on.
// Positions count from 1; 0 means not found. Every comparison is case-sensitive.
#pragma once

#include "core/primitives/types.h"

namespace lw {

// Whole-text pattern match: * any run, ? one character, # one digit, [a-z] a set, [!a-z] its complement.
bool Like(TextView text, TextView pattern);

// First position of find at or after start (start counts from 1), else 0. An empty find gives start
// when start is within the text (or just past its end), else 0.
size_t InStr(size_t start, TextView text, TextView find);
inline size_t InStr(TextView text, TextView find) { return InStr(1, text, find); }
// Last position of find, else 0.
size_t InStrRev(TextView text, TextView find);

// Every occurrence, left to right, without rescanning replaced text. An empty find changes nothing.
Text Replace(TextView text, TextView find, TextView with);

// Counts beyond the end yield what there is; never fail.
Text Left(TextView text, size_t count);
Text Right(TextView text, size_t count);
Text Mid(TextView text, size_t start);  // from start (1-based) to the end
Text Mid(TextView text, size_t start, size_t count);

// Blanks only; tabs and line breaks stay.
Text Trim(TextView text);
Text LTrim(TextView text);
Text RTrim(TextView text);
Text LCase(TextView text);
Text UCase(TextView text);
Text Space(size_t n);
Text Chr(int code);
// Code of the first character; raises 5 on an empty text.
int Asc(TextView text);

// The number at the start of the text: skips blanks, tabs and line feeds (also inside the digits),
// takes a sign, digits, one point, an exponent, and stops quietly at anything else. Never fails.
double Val(TextView text);
double Val(const Variant& v);  // Null gives 0

}  // namespace lw
