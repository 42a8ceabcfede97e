#include <roots/containers/BryMemoryController.h>

BryMemoryControllerController& BryMemoryControllerController::operator=(const BryMemoryControllerController&) {
    return *this;
}

unsigned char* BryMemoryControllerController::allocateArray(const long& count, const unsigned int& elementSize) {
    return new unsigned char[static_cast<unsigned int>(count) * elementSize];
}

void BryMemoryControllerController::deallocateArray(unsigned char*& bytes) {
    if (bytes == nullptr) return;
    delete[] bytes;
    bytes = nullptr;
}
