// DUNXBase: the whole public interface in one include.
#pragma once

#include <dunx/DUNXExport.h>

#include <dunx/DUNIResult.h>
#include <dunx/DUNXArgs.h>
#include <dunx/DUNXCfgFile.h>
#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXError.h>
#include <dunx/DUNXEvent.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXFile.h>
#include <dunx/DUNXFileHeader.h>
#include <dunx/DUNXFilePath.h>
#include <dunx/DUNXHashMap.h>
#include <dunx/DUNXInputStream.h>
#include <dunx/DUNXLogger.h>
#include <dunx/DUNXMessageEvent.h>
#include <dunx/DUNXObject.h>
#include <dunx/DUNXOption.h>
#include <dunx/DUNXOptionName.h>
#include <dunx/DUNXOptions.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXProperties.h>
#include <dunx/DUNXReferenceCount.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/DUNXString.h>
#include <dunx/DUNXTaskEvent.h>
#include <dunx/DUNXTimingLogger.h>
#include <dunx/DUNXTrace.h>
#include <dunx/DUNXValue.h>
#include <dunx/Gk_Def.h>
#include <dunx/Gk_ErrMgr.h>
#include <dunx/Gk_Observer.h>
