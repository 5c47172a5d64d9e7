// SPDX-License-Identifier: Apache-2.0
// A program that does nothing: what the loading of the library is compared with.
int main() { return 0; }
