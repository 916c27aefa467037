// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Diagnostics/QVMapDiagnosticOptions.h"
#include "Interface/QVFindingAction.h"

#include <memory>

/** The setup window as an editor registers it; its content is SQVMapSetupWindow. Game thread. */
struct FQVMapSetupWindow
{
	static constexpr std::string_view WindowId = "QVMapSetup";

	/** From now on it is shown when the program's main window comes, if something is missing and the user wants it. */
	static void Register();
	static void Unregister();
	/** Brings it to the front. */
	static void Open();
};

class IQVSetupWindowView : public IQVFindingView
{
public:
	/** Any of what the window shows is another one now. */
	virtual void OnChanged() = 0;
};

/** The setup checklist without its drawing: what is still missing before a map can be packed and played. Game thread.
 */
class SQVMapSetupWindow
{
public:
	static constexpr std::string_view TextNamespace = "SQVMapSetupWindow";

	/** Evaluates the list, and looks for a newer mapping project unless that was done before. The view outlives the
	 * window. */
	explicit SQVMapSetupWindow(IQVSetupWindowView& InView);
	SQVMapSetupWindow(const SQVMapSetupWindow&) = delete;
	SQVMapSetupWindow& operator=(const SQVMapSetupWindow&) = delete;

	static FQVText GetTitle();
	/** Which toolkit this is. */
	static FQVText GetVersion();
	/** What is said above the list: all is there, or how much is not. */
	FQVText GetSummary() const;
	const FQVDiagnosticFindings& GetRows() const { return Rows; }
	/** That a newer mapping project is there; empty if it is not, and while nobody knows. */
	FQVText GetUpdate() const;

	static FQVText GetShowOnStartupLabel();
	static bool GetShowOnStartup();

	// what the user does
	/** The button of a row; nothing without one. */
	void Act(std::size_t Row);
	void Refresh();
	void NewMap();
	void OpenDownloadPage();
	void SetShowOnStartup(bool bShow);

private:
	IQVSetupWindowView& View;
	FQVDiagnosticFindings Rows;
	/** For an answer that may outlive the window. */
	const std::shared_ptr<SQVMapSetupWindow*> Self = std::make_shared<SQVMapSetupWindow*>(this);
	FQVSubscription BuildEndedHandle;

	FQVDiagnosticActions MakeActions();
	void Evaluate();
	void LookForUpdate();
};
