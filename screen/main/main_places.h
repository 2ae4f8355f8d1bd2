// Where the controls of the main form stand, for a front end that lays the screen out itself: the
// selectors and the list bar down the left side, the meter at the foot, and every other control on its
// page of SSTab1 (in that page's frame, `tab_page_fra(N)`), with a caption label in front of the fields
// that have none and the layout hints of pages and groups.
#pragma once

namespace lw {

class MainForm;

// Puts every control of the main form that has no place yet in its place; controls a subsystem placed
// itself are left where they are. Runs once the subsystems have added their controls, before the form
// is first shown.
void PlaceMainControls(MainForm& form);

}  // namespace lw
