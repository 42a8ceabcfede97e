// Raw bytes for the containers.
#pragma once

#include <roots/Export.h>

// Obtains and releases the storage beneath the library's arrays, so that storage made in one module may be released
// in another. All operations are static; an object of the class has no data.
class KELROOTS_API BryMemoryControllerController {
public:
    BryMemoryControllerController() = default;
    BryMemoryControllerController(const BryMemoryControllerController&) = default;
    ~BryMemoryControllerController() = default;

    // Does nothing; there is nothing to copy.
    BryMemoryControllerController& operator=(const BryMemoryControllerController&);

    // A fresh array of count * elementSize bytes, not initialised, aligned as operator new[] aligns. The product is
    // taken in unsigned 32-bit arithmetic: whoever asks for more than 4,294,967,295 bytes has to refuse that himself
    // (BryArray does). Throws std::bad_alloc when memory is exhausted. The caller owns the bytes; only
    // deallocateArray releases them.
    static unsigned char* allocateArray(const long& count, const unsigned int& elementSize);

    // Releases what allocateArray gave and sets the pointer to null. A null pointer is left alone.
    static void deallocateArray(unsigned char*& bytes);
};
