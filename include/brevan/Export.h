#ifndef BREVAN_EXPORT_H
#define BREVAN_EXPORT_H

/// Marks what the library exports. Everything else is hidden.
#define BREVAN_API __attribute__((visibility("default")))

#endif
