// Method dispatch and its handlers.
#include "MethodDispatch.h"

namespace kvt::profiling {

bool dispatchMessage(EventModel&, VisibilityLevel, const schema::Message&) {
  return false;
}

} // namespace kvt::profiling
