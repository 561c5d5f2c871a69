#pragma once

// The part of CoreLocation that the adapters use, as its public documentation describes it.
#import <Foundation/Foundation.h>

typedef double CLLocationDegrees;
typedef double CLLocationDistance;
typedef double CLLocationAccuracy;

struct CLLocationCoordinate2D {
    CLLocationDegrees latitude;
    CLLocationDegrees longitude;
};
typedef struct CLLocationCoordinate2D CLLocationCoordinate2D;

#ifdef __cplusplus
extern "C" {
#endif
CLLocationCoordinate2D CLLocationCoordinate2DMake(CLLocationDegrees latitude,
                                                  CLLocationDegrees longitude);
BOOL CLLocationCoordinate2DIsValid(CLLocationCoordinate2D coordinate);
#ifdef __cplusplus
}
#endif

@interface CLLocation : NSObject {
    CLLocationCoordinate2D _coordinate;
    CLLocationDistance _altitude;
    CLLocationAccuracy _verticalAccuracy;
}
@property(readonly, nonatomic) CLLocationCoordinate2D coordinate;
@property(readonly, nonatomic) CLLocationDistance altitude;
@property(readonly, nonatomic) CLLocationAccuracy verticalAccuracy;
- (instancetype)initWithCoordinate:(CLLocationCoordinate2D)coordinate
                          altitude:(CLLocationDistance)altitude
                horizontalAccuracy:(CLLocationAccuracy)horizontalAccuracy
                  verticalAccuracy:(CLLocationAccuracy)verticalAccuracy
                         timestamp:(NSDate*)timestamp;
@end
