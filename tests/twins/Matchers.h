#pragma once

#include <gmock/gmock.h>

namespace wattlark {

// What many tests expect with, under its own name.
using testing::_;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

}  // namespace wattlark
