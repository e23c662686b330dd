#ifndef DAL_MGMT_SPI_INTERFACE_H
#define DAL_MGMT_SPI_INTERFACE_H

#ifdef __cplusplus
extern "C" {
#endif

/// Names one interface of one component. Every interface table begins with such a descriptor, by value, so that a
/// pointer to a table is a pointer to its descriptor too.
///
/// The three texts are NUL-terminated, owned by the component that offers the interface, and live as long as the
/// table does.
typedef struct DalMgmtSpiInterface_1 {
    const char* componentName;
    const char* interfaceName;
    const char* interfaceVersion;  ///< a decimal number as text: "1", "2", ...
} DalMgmtSpiInterface_1;

#ifdef __cplusplus
}
#endif

#endif
