// Expected outputs kept as files under test/golden, compared byte for byte.
#pragma once

#include <string>

namespace kvt::profiling::testing {

// Expects actual to equal the golden file golden/<name>. With KVT_UPDATE_GOLDEN=1 in the
// environment the file is rewritten instead, for the diff to be reviewed.
void expectGolden(const std::string& name, const std::string& actual);

} // namespace kvt::profiling::testing
