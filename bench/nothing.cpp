// SPDX-License-Identifier: MIT

// A program that does nothing: what is left of a process when its work is taken away.

int main() {}
