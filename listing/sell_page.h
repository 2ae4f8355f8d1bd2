// The preview of an auction: the cleaned title and location the item request takes, and the page the
// web view shows of the description.
#pragma once

#include "core/primitives/types.h"

namespace lw {

// A field cleaned for the request. Three substitutions are made, each on the field as typed ("<",
// ">", then the double quote), and each result replaces the one before: what stays is the field with
// only its double quotes written "&quot;". The title travels in a CDATA section, where brackets do no
// harm, and the request has always been sent so.
Text CleanField(TextView field);

// The Sell Item page: the description as typed and the footer, raw, so that HTML in them is rendered.
// The page ends with the closing tags of a form and a body it never opened; browsers take them without
// complaint and the page has always been written so.
Text SellPageHtml(TextView description, TextView footer);

}  // namespace lw
