#pragma once

// Writes the name that a compiler made of a function, "_ZN8CCUITest3RunEv", as it is written in the
// source, "CCUITest::Run", cut to what fits. What is more than namespaces, classes and a function
// (operators, templates), or no such name at all, is copied as it is. Private to the layer.
void CUDemangle(const char *mangled, char *name, unsigned int size);
