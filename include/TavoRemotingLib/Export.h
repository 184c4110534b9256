#pragma once

/// Marks what the shared object shows; everything else is hidden.
#define TAVO_EXPORT __attribute__((visibility("default")))

/// Hides a member of a class that is shown.
#define TAVO_LOCAL __attribute__((visibility("hidden")))
