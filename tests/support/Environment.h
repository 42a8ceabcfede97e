// Sets a variable of this process's environment.
#pragma once

#include <stdlib.h>

inline void setEnvironment(const char* name, const char* value) {
#ifdef _WIN32
    _putenv_s(name, value);
#else
    setenv(name, value, 1);
#endif
}
