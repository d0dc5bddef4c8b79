#pragma once

// Everything of the SDK's interface.
#include "plkconfig.h"
#include "plkerror.h"
#include "plkfile.h"
#include "plkinit.h"
#include "plklog.h"
#include "plkopencontrol.h"
#include "plkstream.h"
#include "plkstring.h"
#include "plktransform.h"
#include "plktypes.h"
#include "plkview.h"
#include "plkviewmetadata.h"
#include "plkviewparameters.h"
