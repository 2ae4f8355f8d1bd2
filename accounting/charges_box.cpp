#include "accounting/charges_box.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "screen/form.h"

namespace lw {

namespace {

// The background of a box that only shows a result; input boxes are made white by the dialogs.
constexpr int32_t kResultGrey = 0xE0E0E0;

[[noreturn]] void Overflow() {
  throw RuntimeError(err::kOverflow, "Overflow");
}

}  // namespace

double SingleDecimal(float value) {
  if (!std::isfinite(value)) Overflow();
  char buf[32];
  auto written = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::general, 7);
  double out = 0;
  std::from_chars(buf, written.ptr, out);
  return out;
}

Currency SingleToCurrency(float value) {
  return Currency::FromDouble(SingleDecimal(value));
}

float ToSingle(double value) {
  if (!std::isfinite(value) || std::fabs(value) > std::numeric_limits<float>::max()) Overflow();
  return static_cast<float>(value);
}

ChargeBox::ChargeBox(Form& form, Text name, int index, const Regional& regional)
    : MoneyEdit(form, std::move(name), index), regional_(&regional) {
  SetBackcolor(kResultGrey);
}

ChargeBox& ChargeBox::AddTo(Form& form, Text name, int index, const Regional& regional) {
  auto box = std::make_unique<ChargeBox>(form, std::move(name), index, regional);
  ChargeBox& ref = *box;
  form.Adopt(std::move(box));
  return ref;
}

float ChargeBox::Single() const {
  if (exact_) return *exact_;
  if (text().empty()) return 0;
  return ToSingle(CDbl(Variant(text()), *regional_));
}

void ChargeBox::SetSingle(double value) {
  float single = ToSingle(value);
  exact_ = single;
  // The value stays as it came; only the text is cut to two places.
  Control::SetText(Format(Variant(SingleDecimal(single)), u"#######0.00", *regional_));
}

void ChargeBox::SetAmount(const Variant& value) {
  if (value.IsNull()) {
    SetText(Text());
    return;
  }
  SetSingle(CDbl(value, *regional_));
}

void ChargeBox::SetText(const Text& text) {
  exact_.reset();
  Control::SetText(text);
}

bool ChargeBox::Readable(const Text& text) const {
  return text.empty() || IsNumeric(Variant(text), *regional_);
}

void ChargeBox::UserSet(const Text& value) {
  if (!Readable(value))
    throw UserRefused(ToUtf8(Reference()) + " takes a number, not \"" + ToUtf8(value) + "\"");
  MoneyEdit::UserSet(value);
}

void ChargeBox::UserKey(int key_code, int ascii) {
  if (ascii >= u' ' && !locked()) {
    // A sign or a decimal mark may stand alone while the number is being typed.
    Text typed = text() + static_cast<char16_t>(ascii);
    if (!Readable(typed) && !Readable(typed + u"0")) ascii = 0;
  }
  MoneyEdit::UserKey(key_code, ascii);
}

std::optional<Text> ChargeBox::Property(TextView name, const std::vector<Text>& args) const {
  if (args.empty() && LCase(name) == u"value") return CStr(Variant(SingleDecimal(Single())), *regional_);
  return MoneyEdit::Property(name, args);
}

}  // namespace lw
