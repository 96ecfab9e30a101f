// Routes each log message by its method type to the handler that files it in the event model.
#pragma once

#include "EventModel.h"
#include "ExecutionSeam.h"
#include "ProfileLog_generated.h"
#include "plugin/VisibilityLevel.h"

namespace kvt::profiling {

// Files message in model unless its visibility is not below visibilityLevel, and hands each
// execution it carries to every consumer in order. True when the message was taken; false when
// it was dropped or its method type is unknown (reported as "Unknown method type.").
bool dispatchMessage(EventModel& model, const ExecutionConsumers& consumers,
                     VisibilityLevel visibilityLevel, const schema::Message& message);

} // namespace kvt::profiling
