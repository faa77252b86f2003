// DUNXBase: the whole public interface in one include.
#pragma once

#include <dunx/DUNXExport.h>

#include <dunx/DUNIResult.h>
#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXHashMap.h>
#include <dunx/DUNXReferenceCount.h>
#include <dunx/DUNXString.h>
#include <dunx/Gk_Def.h>
