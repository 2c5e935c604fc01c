# Counts the requirements of every service protocol, properties and methods in their order, and fails on one that differs from
# the table: hosts implement them, so none comes or goes by accident. "p" is a property, "m" a method; a property that can be
# written is three requirements, "w".
cmake_minimum_required(VERSION 3.25)
set(shapes
  CategoriesService 5m OnboardingService p4mp9m2p6m2w7m SystemMapsService m ImageAssetsService m PermissionsService 3m
  SystemClockService p3m EmailParsingService m LoginStorageService 3m ReachabilityService pm PipelineBoardService p8m
  SceneLifecycleService 4p AddressGeocoderService m FileAttachmentsService m EmailCapabilitiesService 2m
  SystemUserDefaultsService 4m PipelineBoardFilterService 7m SystemNotificationsService 2m AlertService 2p TasksService m
  EmailsService m ImportService 5m OptionsService 4m SessionService 2pm ActivityService 2m ContactsService 7m
  OnDemandService 4m2pmp AnalyticsService 4m SystemURLService 2m)

# A property is read without arguments and named after what it is; these are all of them.
set(properties loginState downloadProgress currentUser isCompleted scheduler currentStatus boardDidChange didActivate
  willDeactivate didEnterBackground willEnterForeground alerts unreadCount state isAvailable syncEvents migrationState)
set(writable getStartedBanner getStartedSheetOnFirstLogin)

set(failures)
set(seen 0)
file(GLOB headers ${SOURCE}/kestrel/services/*_service.h)
foreach(header IN LISTS headers)
  file(READ ${header} text)
  if(NOT text MATCHES "\nclass ([A-Za-z]+Service) : public ServiceProtocol {(.*)")
    continue()
  endif()
  set(protocol ${CMAKE_MATCH_1})
  string(FIND "${CMAKE_MATCH_2}" "\n};" end)
  string(SUBSTRING "${CMAKE_MATCH_2}" 0 ${end} body)
  # Each requirement's name, which stands before its parameters.
  string(REGEX REPLACE "[ \n]+" " " body "${body}")
  string(REGEX MATCHALL "virtual [^;]*= 0" requirements "${body}")
  set(kinds)
  foreach(requirement IN LISTS requirements)
    string(REGEX REPLACE "^virtual [A-Za-z_:]*(<.*>)? ([A-Za-z]+)\\(.*$" "\\2" name "${requirement}")
    if(name IN_LIST writable)
      list(APPEND kinds w)
    elseif(name IN_LIST properties)
      list(APPEND kinds p)
    elseif(name MATCHES "^(set|modify)GetStarted")
      # Belongs to the property before it.
    else()
      list(APPEND kinds m)
    endif()
  endforeach()
  # Runs of the same kind as a number and the kind.
  set(shape)
  set(run 0)
  set(kind)
  foreach(next IN LISTS kinds ITEMS end)
    if(next STREQUAL kind)
      math(EXPR run "${run} + 1")
    else()
      if(run GREATER 1)
        string(APPEND shape ${run})
      endif()
      string(APPEND shape "${kind}")
      set(kind ${next})
      set(run 1)
    endif()
  endforeach()
  list(FIND shapes ${protocol} place)
  if(place EQUAL -1)
    list(APPEND failures "${protocol} is ${shape}, and not in the table")
    continue()
  endif()
  math(EXPR seen "${seen} + 1")
  math(EXPR place "${place} + 1")
  list(GET shapes ${place} expected)
  if(NOT shape STREQUAL expected)
    list(APPEND failures "${protocol} is ${shape}, not ${expected}")
  endif()
endforeach()
if(failures OR NOT seen EQUAL 28)
  list(JOIN failures "\n  " lines)
  message(FATAL_ERROR "${seen} of 28 protocols were found.\n  ${lines}")
endif()
