// SPDX-License-Identifier: MIT
#pragma once

/**
 * A module as the engine's loader handles it: made by the module's own `InitializeModule`, started, shut down, deleted.
 * The operations stand in the order of the loader's table. Game thread.
 */
class IQVModuleInterface
{
public:
	virtual ~IQVModuleInterface() = default;
	virtual void StartupModule() {}
	virtual void PreUnloadCallback() {}
	virtual void PostLoadCallback() {}
	virtual void ShutdownModule() {}
	virtual bool SupportsDynamicReloading() { return true; }
	virtual bool SupportsAutomaticShutdown() { return true; }
	virtual bool IsGameModule() const { return false; }
};
