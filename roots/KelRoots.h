// Everything that KelRoots offers, in one include.
#pragma once

#include <roots/Version.h>
#include <roots/containers/BryArray.h>
#include <roots/containers/BryBalancedTree.h>
#include <roots/containers/BryMemoryController.h>
#include <roots/containers/BryStringClassArray.h>
#include <roots/files/BryDebugInterfaces.h>
#include <roots/files/BryFileAccess.h>
#include <roots/files/BryGlobalStorage.h>
#include <roots/files/BryLogfile.h>
#include <roots/files/BryPerfMonitor.h>
#include <roots/files/BryWinMessage.h>
#include <roots/numbering/BryIncrementalCounter.h>
#include <roots/numbering/BryNumberCreator.h>
#include <roots/numeric/BryDouble.h>
#include <roots/numeric/BryMathUtilities.h>
#include <roots/numeric/BryProfTypeDSTVValues.h>
#include <roots/numeric/BryRegExWrapper.h>
#include <roots/numeric/BryTimeUtilities.h>
#include <roots/numeric/BryZClipping.h>
#include <roots/progress/BryProcessEvolutionManager.h>
#include <roots/settings/BryRegistry.h>
#include <roots/text/BryRuntime.h>
#include <roots/text/BryString.h>
