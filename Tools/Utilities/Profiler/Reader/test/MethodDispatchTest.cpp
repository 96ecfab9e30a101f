// The level filter of message dispatch, against reader levels the golden cases, which keep every
// level below the maximum, cannot choose; the golden cases pin how each message type is filed.
#include "model/MethodDispatch.h"
#include "log/FlatBufferReaderUtil.h"
#include "support/LogSpecs.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

TEST(MethodDispatch, KeepsOnlyLevelsStrictlyBelowTheReaders) {
  struct Case {
    const char* what;
    int8_t readerLevel;
    std::optional<int8_t> visibility;
    bool taken;
  };
  const Case cases[] = {
      {"absent level against 0", 0, std::nullopt, false},
      {"absent level against 1", 1, std::nullopt, true},
      {"-1 against 0", 0, -1, true},
      {"equal levels", 3, 3, false},
      {"127 against 127", 127, 127, false},
      {"compared signed: 100 against -1", -1, 100, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    MessageSpec init = testing::messageSpec(4);
    init.visibility = c.visibility;
    std::vector<uint8_t> buffer = buildChunk(testing::chunkOf({init}));
    buffer.erase(buffer.begin(), buffer.begin() + 4); // the size prefix
    FlatBufferReaderUtil stream;
    ASSERT_TRUE(stream.loadBuffer(buffer));
    EventModel model;
    EXPECT_EQ(dispatchMessage(model, {}, VisibilityLevel{c.readerLevel}, *stream.nextMessage()),
              c.taken);
    EXPECT_EQ(model.initSlot.present, c.taken);
  }
}

} // namespace
} // namespace kvt::profiling
