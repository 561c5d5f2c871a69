// What Foundation asks of a runtime with blocks.
#include <Block.h>
