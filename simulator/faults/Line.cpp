#include "Line.h"

namespace Brenmoor {
namespace TavoSimulator {

Line::~Line() = default;

} // namespace TavoSimulator
} // namespace Brenmoor
