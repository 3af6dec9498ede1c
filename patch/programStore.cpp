#include "patch/programStore.h"
