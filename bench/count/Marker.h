#pragma once

/// A call of getpriority() that fails, and does nothing else but show the plugin of qemu where
/// a region begins (`who` 0) and ends (`who` 1).
enum { markerWhich = 0x7A0 };
