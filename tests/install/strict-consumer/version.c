// SPDX-License-Identifier: MIT

/* The version, for a program in C. */

#include <Pelluvia/model/Version.h>

#include <string.h>

#if !PELLUVIA_VERSION_AT_LEAST(1, 0, 0) || PELLUVIA_VERSION_AT_LEAST(PELLUVIA_VERSION_MAJOR + 1, 0, 0)
#error "the macros do not agree"
#endif

int main(void) {
    return PelluviaVersionNumber == 1.0 && strstr(PelluviaVersionString, "Pelluvia") ? 0 : 1;
}
