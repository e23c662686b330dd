#ifndef TEV_EXCEPTION_H
#define TEV_EXCEPTION_H

#include <exception>
#include <stdexcept>

#include "TevCommonApi.h"
#include "TevReturnT.h"

namespace Tev {

/// A failure with a return code and a text. The text may have any length.
///
/// Copies share the text, so copying never throws. One object may be read by several threads.
class TEV_COMMON_API TevException : public std::exception {
public:
    /// A failure with code `code`; `format` and what follows it are as for `printf`.
    TevException(TevReturnT code, const char* format, ...) __attribute__((format(printf, 3, 4)));

    /// A failure with code -1; `format` and what follows it are as for `printf`.
    explicit TevException(const char* format, ...) __attribute__((format(printf, 2, 3)));

    TevException(const TevException&) noexcept = default;
    TevException& operator=(const TevException&) noexcept = default;
    ~TevException() override;

    /// The text, owned by this exception and its copies.
    const char* what() const noexcept override;

    TevReturnT getReturnCode() const noexcept;

private:
    TevReturnT returnCode;
    std::runtime_error text;  // a shared text: what makes copying safe
};

}  // namespace Tev

#endif
