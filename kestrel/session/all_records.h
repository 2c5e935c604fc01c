#pragma once

/// Every record type of the register, complete. What visits `recordTypes` and needs values of each type, such as a
/// reader of documents of any type, includes this; what knows its records includes those, which compile faster. It
/// stands in the lowest room that has a record.

#include <kestrel/access/visibility_preset.h>
#include <kestrel/activity/email.h>
#include <kestrel/activity/email_message_status.h>
#include <kestrel/activity/form.h>
#include <kestrel/activity/note.h>
#include <kestrel/boards/opportunity_state_reason.h>
#include <kestrel/boards/pipeline.h>
#include <kestrel/calendar/alert_object.h>
#include <kestrel/calendar/occurrence_exceptions.h>
#include <kestrel/calendar/reminder.h>
#include <kestrel/calendar/repeat_entries.h>
#include <kestrel/calendar/task.h>
#include <kestrel/calendar/task_list.h>
#include <kestrel/calendar/timeblock.h>
#include <kestrel/custom/custom_record.h>
#include <kestrel/details/electronic_address.h>
#include <kestrel/details/geo_address.h>
#include <kestrel/details/label.h>
#include <kestrel/details/phone.h>
#include <kestrel/files/file_attachment.h>
#include <kestrel/files/image_asset.h>
#include <kestrel/files/url_reference.h>
#include <kestrel/invitations/external_invitation.h>
#include <kestrel/invitations/external_invitation_config.h>
#include <kestrel/invitations/external_invitation_recipient.h>
#include <kestrel/invitations/meeting_history.h>
#include <kestrel/invitations/meeting_invite.h>
#include <kestrel/lookups/category.h>
#include <kestrel/lookups/company_types.h>
#include <kestrel/lookups/keyword.h>
#include <kestrel/lookups/opportunity_type.h>
#include <kestrel/lookups/team.h>
#include <kestrel/lookups/user.h>
#include <kestrel/records/company.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/extra_fields_names.h>
#include <kestrel/records/extra_v_info.h>
#include <kestrel/records/group.h>
#include <kestrel/records/opportunity.h>
#include <kestrel/records/project.h>
#include <kestrel/relationships/any_relationship.h>
#include <kestrel/relationships/any_role.h>
#include <kestrel/relationships/relationship_type.h>
#include <kestrel/relationships/role_type.h>
#include <kestrel/session/database_preference.h>
