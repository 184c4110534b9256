#pragma once

/// Marks what the shared object shows; everything else is hidden.
#define MIRRIN_EXPORT __attribute__((visibility("default")))
