#include "Tests/Kovalt/ReplyForms.h"
