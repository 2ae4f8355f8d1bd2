#include "screen/edits.h"

#include <string>

#include "core/primitives/encoding.h"
#include "core/primitives/text.h"

namespace lw {

std::optional<Text> MoneyEdit::Property(TextView name, const std::vector<Text>& args) const {
  Text n = LCase(name);
  if (n == u"symbol") return symbol;
  if (n == u"decimalmark") return decimal_mark;
  return Control::Property(name, args);
}

std::optional<Text> DateEditBox::Property(TextView name, const std::vector<Text>& args) const {
  if (LCase(name) == u"dayfirst") return T(std::to_string(day_first));
  return Control::Property(name, args);
}

}  // namespace lw
