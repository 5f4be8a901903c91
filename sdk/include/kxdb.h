// Everything of the drawing database in one include.
#pragma once

#include "kxcmcolor.h"
#include "kxdbapi.h"
#include "kxdbclass.h"
#include "kxdbdatabase.h"
#include "kxdbdict.h"
#include "kxdbents.h"
#include "kxdbid.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbobject.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"
