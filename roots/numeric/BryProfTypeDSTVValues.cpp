#include <roots/numeric/BryProfTypeDSTVValues.h>

BryString BryProfTypeDSTVValues::getProftypeString() const {
    switch (m_type) {
#define CODE(name, value, code) \
    case name: return L##code;
        KELROOTS_DSTV_TYPES(CODE)
#undef CODE
    }
    return L"SO";
}
