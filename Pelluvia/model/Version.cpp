// SPDX-License-Identifier: MIT

#include <Pelluvia/model/Version.h>

const char PelluviaVersionString[] = "@(#)PROGRAM:Pelluvia  PROJECT:Pelluvia-1\n";
const double PelluviaVersionNumber = 1.0;
