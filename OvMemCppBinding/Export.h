#ifndef OVMEMCPPBINDING_EXPORT_H
#define OVMEMCPPBINDING_EXPORT_H

// OVMEM_EXPORT marks what an application may link to. The library is built
// with hidden visibility, so a declaration without the mark stays inside it.
#define OVMEM_EXPORT __attribute__((visibility("default")))

#endif
