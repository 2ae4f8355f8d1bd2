// The routine registry of the main form. The subsystems above the screen (import, listing, letters,
// accounting ...) register their commands here by routine name; the main form's list bar, toolbars and
// menus, and its own calls into later routines (auction_filter, sum_grid, change_user_id ...), go through
// it by name.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace lw {

class Routines {
 public:
  using Handler = std::function<void()>;
  // A later registration of the same name replaces the earlier one.
  void Register(std::string name, Handler handler) { handlers_[std::move(name)] = std::move(handler); }
  bool Has(std::string_view name) const { return handlers_.find(name) != handlers_.end(); }
  // Runs the routine; false when nobody registered it.
  bool Call(std::string_view name) const {
    auto it = handlers_.find(name);
    if (it == handlers_.end() || !it->second) return false;
    it->second();
    return true;
  }

 private:
  std::map<std::string, Handler, std::less<>> handlers_;
};

}  // namespace lw
