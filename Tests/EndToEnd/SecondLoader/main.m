// SPDX-License-Identifier: MIT
// Opens an interface file with NSNib and writes as JSON what came of it. Arguments: the file, its owner's class.
// Exit status 1: the file could not be opened; the reason is on standard error.

#import <AppKit/AppKit.h>
#include <objc/runtime.h>
#include <stdio.h>

// Each class that an interface file names stands here with its outlets and actions and nothing else.
@interface ZRLoadingWndCtl : NSObject
{
  NSWindow *window;
  NSTextField *lblPrgTip;
  NSTextField *lblSaveProgress;
  NSProgressIndicator *prgSaving;
  NSButton *btnCancel;
}
@end

@implementation ZRLoadingWndCtl
- (void) cancelDown: (id)sender {}
@end

@interface MASPreferencesWindowController : NSObject
{
  NSWindow *window;
}
@end

@implementation MASPreferencesWindowController
@end

@interface ZRTrustedPathViewCtl : NSObject
{
  NSView *view;
  NSTableView *tableView;
  NSView *loadingBgView;
  NSProgressIndicator *loadingIndicator;
  NSTextField *lblLoadingTips;
  NSTextField *lblLoadingPath;
}
@end

@implementation ZRTrustedPathViewCtl
- (void) addFolderDown: (id)sender {}
- (void) removeFolderDown: (id)sender {}
- (void) loadingCancelClick: (id)sender {}
@end

@interface FolderList : NSObject
{
  NSView *view;
  NSTableView *tableView;
  NSProgressIndicator *busy;
}
@end

@implementation FolderList
- (NSInteger) numberOfRowsInTableView: (NSTableView *)table { return 0; }
- (id) tableView: (NSTableView *)table objectValueForTableColumn: (NSTableColumn *)column row: (NSInteger)row { return @""; }
@end

static NSMutableArray *objects;    // the owner first
static NSMutableArray *attributes; // user-defined ones, in the order of the file

// NSNib reads user-defined attributes but sets none of them, so they are caught where they are read.
static id (*readAttribute)(id, SEL, NSCoder *);

static id noteAttribute(id attribute, SEL selector, NSCoder *coder)
{
  attribute = readAttribute(attribute, selector, coder);
  [attributes addObject: [NSDictionary dictionaryWithObjectsAndKeys:
    [attribute keyPath], @"keyPath", [[attribute value] description], @"value", nil]];
  return attribute;
}

static void noteAttributes(void)
{
  Method method = class_getInstanceMethod(NSClassFromString(@"IBUserDefinedRuntimeAttribute5"), @selector(initWithCoder:));
  if (method == NULL)
    [NSException raise: NSInternalInconsistencyException format: @"no reader of user-defined attributes"];
  readAttribute = (id (*)(id, SEL, NSCoder *))method_setImplementation(method, (IMP)noteAttribute);
}

static void collect(id object)
{
  if (object == nil || [objects indexOfObjectIdenticalTo: object] != NSNotFound)
    return;
  [objects addObject: object];
  if ([object isKindOfClass: [NSWindow class]])
    {
      collect([object contentView]);
      collect([object toolbar]);
    }
  if ([object isKindOfClass: [NSView class]])
    {
      for (NSView *view in [object subviews])
        collect(view);
    }
}

// A number, or null for what is not among the objects.
static id place(id object)
{
  NSUInteger index = [objects indexOfObjectIdenticalTo: object];
  return index == NSNotFound ? (id)[NSNull null] : [NSNumber numberWithUnsignedInteger: index];
}

static void addOutlet(NSMutableArray *outlets, id object, NSString *name, id value)
{
  if (value)
    [outlets addObject: [NSDictionary dictionaryWithObjectsAndKeys:
      place(object), @"of", name, @"name", place(value), @"to", nil]];
}

static void addOutletIfAny(NSMutableArray *outlets, id object, NSString *name)
{
  if ([object respondsToSelector: NSSelectorFromString(name)])
    addOutlet(outlets, object, name, [object valueForKey: name]);
}

static void addOutlets(NSMutableArray *outlets, id object)
{
  addOutletIfAny(outlets, object, @"delegate");
  addOutletIfAny(outlets, object, @"dataSource");
  if (object != [objects objectAtIndex: 0])
    return;
  unsigned int count = 0;
  Ivar *fields = class_copyIvarList([object class], &count);
  for (unsigned int i = 0; i < count; i++)
    addOutlet(outlets, object, [NSString stringWithUTF8String: ivar_getName(fields[i])], object_getIvar(object, fields[i]));
  free(fields);
}

static void addAction(NSMutableArray *actions, id object)
{
  if (![object respondsToSelector: @selector(action)] || [object action] == NULL)
    return;
  BOOL answered = [[object target] respondsToSelector: [object action]];
  [actions addObject: [NSDictionary dictionaryWithObjectsAndKeys:
    place(object), @"of", NSStringFromSelector([object action]), @"selector", place([object target]), @"to",
    [NSNumber numberWithBool: answered], @"answered", nil]];
}

static NSString *titleOf(id object)
{
  if ([object isKindOfClass: [NSWindow class]] || [object isKindOfClass: [NSButton class]])
    return [object title];
  if ([object isKindOfClass: [NSTextField class]])
    return [object stringValue];
  return nil;
}

// Identifier, title and width of each.
static NSArray *columnsOf(NSTableView *table)
{
  NSMutableArray *columns = [NSMutableArray array];
  for (NSTableColumn *column in [table tableColumns])
    [columns addObject: [NSArray arrayWithObjects: [column identifier], [[column headerCell] stringValue],
      [NSNumber numberWithDouble: [column width]], nil]];
  return columns;
}

static NSDictionary *describe(id object)
{
  NSMutableDictionary *description = [NSMutableDictionary dictionary];
  [description setObject: NSStringFromClass([object class]) forKey: @"class"];
  [description setValue: titleOf(object) forKey: @"title"];
  if ([object isKindOfClass: [NSView class]] || [object isKindOfClass: [NSWindow class]])
    {
      NSRect frame = [object frame];
      [description setObject: [NSArray arrayWithObjects:
        [NSNumber numberWithDouble: NSMinX(frame)], [NSNumber numberWithDouble: NSMinY(frame)],
        [NSNumber numberWithDouble: NSWidth(frame)], [NSNumber numberWithDouble: NSHeight(frame)], nil]
                      forKey: @"frame"];
    }
  if ([object isKindOfClass: [NSView class]])
    {
      [description setObject: place([object superview]) forKey: @"superview"];
      [description setObject: [NSNumber numberWithUnsignedInteger: [object autoresizingMask]] forKey: @"autoresizingMask"];
    }
  if ([object isKindOfClass: [NSTableView class]])
    [description setObject: columnsOf(object) forKey: @"columns"];
  return description;
}

static BOOL openFile(NSString *path, NSString *ownersClass)
{
  NSNib *nib = [[NSNib alloc] initWithContentsOfURL: [NSURL fileURLWithPath: path]];
  id owner = [NSClassFromString(ownersClass) new];
  NSArray *topLevel = nil;
  if (owner == nil)
    NSLog(@"no class %@", ownersClass);
  if (owner == nil || ![nib instantiateNibWithOwner: owner topLevelObjects: &topLevel])
    return NO;
  [objects addObject: owner];
  for (id object in topLevel)
    collect(object);
  return YES;
}

static void writeObjects(void)
{
  NSMutableArray *descriptions = [NSMutableArray array];
  NSMutableArray *outlets = [NSMutableArray array];
  NSMutableArray *actions = [NSMutableArray array];
  for (id object in objects)
    {
      [descriptions addObject: describe(object)];
      addOutlets(outlets, object);
      addAction(actions, object);
    }
  NSDictionary *document = [NSDictionary dictionaryWithObjectsAndKeys:
    descriptions, @"objects", outlets, @"outlets", actions, @"actions", attributes, @"attributes", nil];
  NSData *data = [NSJSONSerialization dataWithJSONObject: document options: 0 error: NULL];
  fwrite([data bytes], 1, [data length], stdout);
}

int main(int argc, char **argv)
{
  BOOL opened = NO;
  [NSAutoreleasePool new]; // until the process ends, since some objects are not fit to be torn down
  objects = [NSMutableArray new];
  attributes = [NSMutableArray new];
  // An exception that is left alone would be shown in a panel that waits for somebody.
  @try
    {
      [NSApplication sharedApplication];
      noteAttributes();
      opened = argc == 3 && openFile([NSString stringWithUTF8String: argv[1]], [NSString stringWithUTF8String: argv[2]]);
      if (opened)
        writeObjects();
    }
  @catch (NSException *exception)
    {
      NSLog(@"%@: %@", [exception name], [exception reason]);
      opened = NO;
    }
  return opened ? 0 : 1;
}
