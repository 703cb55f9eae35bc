#pragma once

#include <boost/function.hpp>
#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal.hpp>

namespace kroui::ui {

// A signal of the user-interface thread: no lock. A slot made by boost::bind over a member of a trackable object is cut
// when that object dies.
template <class... Arguments>
using Signal = boost::signals2::signal<void(Arguments...), boost::signals2::optional_last_value<void>, int,
                                       std::less<int>, boost::function<void(Arguments...)>,
                                       boost::function<void(const boost::signals2::connection&, Arguments...)>,
                                       boost::signals2::dummy_mutex>;

} // namespace kroui::ui
