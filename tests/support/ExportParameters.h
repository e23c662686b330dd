#ifndef EXPORT_PARAMETERS_H
#define EXPORT_PARAMETERS_H

#include <string>
#include <utility>

#include "DalOamSpiManagedObject.h"

namespace TevTest {

/// One string as an action's parameter. The container may be changed to be something else.
struct Parameter {
    explicit Parameter(std::string value) : text(std::move(value)) { cell.theString = text.data(); }
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;

    std::string text;
    DalMoAttributeValue cell{};
    DalMoAttributeValueContainer container{DalMoTypeString, 1, &cell};
};

/// The parameters of an export, as a null-terminated array.
struct ExportParameters {
    ExportParameters(std::string uriText, std::string passwordText)
        : uri(std::move(uriText)), password(std::move(passwordText)) {}

    Parameter uri;
    Parameter password;
    DalMoAttributeValueContainer* array[3] = {&uri.container, &password.container, nullptr};
};

}  // namespace TevTest

#endif
