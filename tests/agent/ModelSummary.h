#ifndef MODEL_SUMMARY_H
#define MODEL_SUMMARY_H

#include <string>

#include "Model.h"

namespace TevTest {

/// All that `model` holds but its file, on one line: "name version/release/correction domain:key=value... +feature...",
/// "-" for what is absent.
std::string summary(const TevAgent::Model& model);

}  // namespace TevTest

#endif
