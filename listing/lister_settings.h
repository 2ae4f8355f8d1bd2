// The listing settings of a user id: the Sell page's choices that a seller makes once and keeps, carried
// between the page and the columns of the current setup row.
#pragma once

namespace lw {

class Form;
class Recordset;

// Writes the page's settings into the current setup row, in one edit of it. A choice the tables don't
// know writes nothing, so the column keeps what it held.
void save_bulk_listing_values(Form& form, Recordset& setup);

// Shows the settings of the current setup row on the page. A column holding a value the tables don't
// know leaves its control as it was.
void load_lister_settings(Form& form, Recordset& setup);

}  // namespace lw
