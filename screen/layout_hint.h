// How a front end that lays forms out by itself should place a control where order and containment are
// not enough for a readable screen. The model gives no coordinates: these are relations only (which
// field a label names, which controls share a place, what takes the free space), free of any toolkit.
// Forms set them while they build their controls; a front end reads them when it builds its widgets.
#pragma once

namespace lw {

class Control;

struct LayoutHint {
  // A control with no container: the edge of the window it stands at. None puts it in the body.
  enum class Dock { None, Left, Bottom };
  Dock dock = Dock::None;
  // In a tab strip (its container): the page it is on, from 0.
  int page = 0;
  // A label: the field it names, shown in front of that field.
  Control* field = nullptr;
  // Shown in the place of that control: of the two, one is visible at a time (the seller and bidder
  // halves of a field).
  Control* same_place_as = nullptr;
  // A text box of several lines.
  bool multiline = false;
  // Takes the free space of its container. Grids, web views, trees and text boxes of several lines do
  // so without being told.
  bool stretch = false;
  // A frame or page: how many columns its fields stand in.
  int columns = 1;
  // A frame or page: how many columns the frames inside it stand in.
  int frame_columns = 1;
};

}  // namespace lw
