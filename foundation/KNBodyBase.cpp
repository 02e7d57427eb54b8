#include <foundation/KNBodyBase.h>

KNBodyBase::~KNBodyBase() = default;
