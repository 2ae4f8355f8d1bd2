// The charges on the main screen: the two dialogs opened from the details page, "Item is Taxable", the
// quick sums of the price and shipping boxes, the price box that saves as it changes, and the number
// boxes of the lister that take their default back when left empty.
#pragma once

namespace lw {

struct Program;

// Creates the charges dialogs and hangs their handlers on the main form.
void RegisterCharges(Program& program);

}  // namespace lw
