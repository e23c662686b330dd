#include "Problem.h"

#include "Text.h"

namespace TevAgent {

std::string Problem::text() const {
    const std::string place = line == 0 ? file : file + ":" + std::to_string(line);
    return Text::escaped(place + ": " + reason);
}

}  // namespace TevAgent
